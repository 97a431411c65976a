# The compiled help files, one for each folder of readable pages: help/<folder> gives QuillonService_<code>.chm.
find_program(CHMCMD chmcmd REQUIRED)
set(help_files)

function(qln_help_file folder HELP_CODE HELP_TITLE HELP_LANGUAGE)
  set(source ${CMAKE_CURRENT_SOURCE_DIR}/help/${folder})
  set(work ${CMAKE_CURRENT_BINARY_DIR}/help/${folder})
  set(output ${work}/QuillonService_${HELP_CODE}.chm)
  file(GLOB parts CONFIGURE_DEPENDS ${source}/*)
  list(APPEND parts ${CMAKE_CURRENT_SOURCE_DIR}/help/help.css)
  configure_file(help/QuillonService.hhp.in ${work}/QuillonService.hhp @ONLY)
  # The compiler writes beside its sources, so it works on copies; and it does not always tell a failure, so the
  # old file goes first: the kit cannot be laid out without it. It writes the full names of the pages into the
  # file; by this name of its own folder these tell nothing of the machine.
  add_custom_command(OUTPUT ${output}
    COMMAND ${CMAKE_COMMAND} -E rm -f ${output}
    COMMAND ${CMAKE_COMMAND} -E copy ${parts} ${work}
    COMMAND ${CMAKE_COMMAND} -E chdir ${work} ${CHMCMD} --verbosity 0 /proc/self/cwd/QuillonService.hhp
    DEPENDS ${parts} ${work}/QuillonService.hhp COMMENT "Help file QuillonService_${HELP_CODE}.chm" VERBATIM)
  set(help_files ${help_files} ${output} PARENT_SCOPE)
endfunction()

qln_help_file(en ENU "Quillon Service Help" "0x409 English (United States)")
qln_help_file(de DEU "Hilfe zum Quillon-Dienst" "0x407 German (Germany)")
qln_help_file(fr FRA "Aide du service Quillon" "0x40c French (France)")
add_custom_target(help_files DEPENDS ${help_files})
