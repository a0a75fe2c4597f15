#!/usr/bin/env bash
# Draws every dialog in every shipped language into a folder, docs/pictures unless one is named. Builds what it needs.
set -eu
cd "$(dirname "$0")/.."
folder=${1:-docs/pictures}
mkdir -p "$folder"
cmake --preset release >/dev/null
cmake --build --preset release --target nv_dialog_text_tests
NV_PICTURE_FOLDER=$(realpath "$folder") XDG_CONFIG_HOME=/nonexistent XDG_CONFIG_DIRS=/nonexistent \
  build/release/tests/display/nv_dialog_text_tests --gtest_filter='DialogTexts.FitTheirControls*' --gtest_brief=1
ls "$folder"
