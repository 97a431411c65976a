# The compiled help files, one for each folder of readable pages: help/<folder> gives QuillonService_<code>.chm.
find_program(CHMCMD chmcmd REQUIRED)
set(help_files)

function(qln_help_file folder code)
  set(source ${CMAKE_CURRENT_SOURCE_DIR}/help/${folder})
  set(work ${CMAKE_CURRENT_BINARY_DIR}/help/${folder})
  set(output ${work}/QuillonService_${code}.chm)
  file(GLOB parts CONFIGURE_DEPENDS ${source}/*)
  file(MAKE_DIRECTORY ${work})
  # The compiler writes beside its sources, so it works on copies; and it does not always tell a failure, so the
  # old file goes first: the kit cannot be laid out without it.
  add_custom_command(OUTPUT ${output}
    COMMAND ${CMAKE_COMMAND} -E rm -f ${output}
    COMMAND ${CMAKE_COMMAND} -E copy ${parts} ${work}
    COMMAND ${CMAKE_COMMAND} -E chdir ${work} ${CHMCMD} --verbosity 0 QuillonService.hhp
    DEPENDS ${parts} COMMENT "Help file QuillonService_${code}.chm" VERBATIM)
  set(help_files ${help_files} ${output} PARENT_SCOPE)
endfunction()

qln_help_file(en ENU)
add_custom_target(help_files DEPENDS ${help_files})
