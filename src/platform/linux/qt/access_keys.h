// Access keys: the letters that reach the controls of a dialog with Alt, for the texts that mark none themselves.
#ifndef NVSUPPORT_PLATFORM_LINUX_QT_ACCESS_KEYS_H
#define NVSUPPORT_PLATFORM_LINUX_QT_ACCESS_KEYS_H

#include <QWidget>
#include <vector>

namespace windowing {

// Marks a letter in the text of each button but OK and Cancel, and of each label that names an edit. No two controls
// get the same letter; one that begins a word is taken first. A text whose letters are all taken stays unmarked.
void GiveAccessKeys(const std::vector<QWidget*>& controls);

}  // namespace windowing

#endif
