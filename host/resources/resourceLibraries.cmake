# Resource-only libraries from readable sources: string tables and a version resource, made with the packaged
# resource compiler and linker, read as data only.
find_program(WINDRES x86_64-w64-mingw32-windres REQUIRED)
find_program(RESOURCE_LD x86_64-w64-mingw32-ld REQUIRED)
set(resource_folder ${CMAKE_CURRENT_BINARY_DIR}/resources)
file(MAKE_DIRECTORY ${resource_folder})
set(resource_libraries)

# Makes resource_folder/<library> from the resource script <script>.
function(qln_resource_library library script)
  set(object ${resource_folder}/${library}.o)
  set(output ${resource_folder}/${library})
  string(REPLACE "." "," comma_version ${PROJECT_VERSION})
  add_custom_command(OUTPUT ${output}
    COMMAND ${WINDRES} --preprocessor=${CMAKE_CXX_COMPILER} --preprocessor-arg=-E --preprocessor-arg=-xc-header
      --preprocessor-arg=-DRC_INVOKED --codepage=65001 -DVERSION_NUMBERS=${comma_version} ${script} -o ${object}
    COMMAND ${RESOURCE_LD} --dll --entry 0 --subsystem windows --no-insert-timestamp -o ${output} ${object}
    DEPENDS ${script}
    COMMENT "Resource library ${library}" VERBATIM)
  list(APPEND resource_libraries ${output})
  set(resource_libraries ${resource_libraries} PARENT_SCOPE)
endfunction()

foreach(library HbQlnSvcRes_ENU.dll MeridaneCorvane_HbQlnSvc.dll QLNTest_MC.DLL)
  get_filename_component(name ${library} NAME_WE)
  qln_resource_library(${library} ${CMAKE_CURRENT_SOURCE_DIR}/resources/${name}.rc)
endforeach()

# The console's texts in another language: one readable file each.
set(language_libraries)
function(qln_language_library code id)
  set(texts ${CMAKE_CURRENT_SOURCE_DIR}/languages/${code}.txt)
  set(script ${resource_folder}/${code}.rc)
  set(maker ${CMAKE_CURRENT_SOURCE_DIR}/resources/languageScript)
  add_custom_command(OUTPUT ${script}
    COMMAND ${maker} ${code} ${id} ${texts} > ${script}
    DEPENDS ${texts} ${maker} VERBATIM)
  qln_resource_library(QLNbrandingres_${code}.dll ${script})
  set(resource_libraries ${resource_libraries} PARENT_SCOPE)
  set(language_libraries ${language_libraries} ${resource_folder}/QLNbrandingres_${code}.dll PARENT_SCOPE)
endfunction()

qln_language_library(ENU 1033)
qln_language_library(DEU 1031)
qln_language_library(FRA 1036)
