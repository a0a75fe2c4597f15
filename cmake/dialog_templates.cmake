# nv_add_dialog_templates(TARGET SCRIPT): compiles the resource script of a module into a target. On Windows the linker
# takes it as it is; elsewhere the compiled script stands in the target as bytes that its window core finds by symbol.
function(nv_add_dialog_templates target script)
  cmake_path(ABSOLUTE_PATH script)
  if(WIN32)
    target_sources(${target} PRIVATE ${script})
    return()
  endif()
  find_program(NV_LLVM_RC NAMES llvm-rc llvm-rc-14 llvm-rc-15 llvm-rc-16 REQUIRED)
  set(name ${target}_templates)
  set(stem ${CMAKE_CURRENT_BINARY_DIR}/${name})
  # llvm-rc gets relative names: it would take an absolute one that begins like an option (/c..., /d...) for that option.
  add_custom_command(
    OUTPUT ${stem}.res
    COMMAND ${CMAKE_C_COMPILER} -E -P -x c -I${PROJECT_SOURCE_DIR}/src/resources -MD -MF ${stem}.d -MT ${stem}.res
            ${script} -o ${stem}.i.rc
    COMMAND ${NV_LLVM_RC} /no-preprocess /fo ${name}.res ${name}.i.rc
    WORKING_DIRECTORY ${CMAKE_CURRENT_BINARY_DIR}
    DEPENDS ${script}
    DEPFILE ${stem}.d
    VERBATIM)
  set(NV_COMPILED ${stem}.res)
  configure_file(${PROJECT_SOURCE_DIR}/cmake/embed.S.in ${stem}.S @ONLY)
  add_custom_target(${name} DEPENDS ${stem}.res)
  add_dependencies(${target} ${name})
  set_source_files_properties(${stem}.S TARGET_DIRECTORY ${target} PROPERTIES OBJECT_DEPENDS ${stem}.res)
  target_sources(${target} PRIVATE ${stem}.S)
endfunction()
