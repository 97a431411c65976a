# The kit: what an installation tree is filled from, laid out as the tree is. It stands beside qlnhost.
set(kit ${CMAKE_BINARY_DIR}/host/kit)
add_custom_command(OUTPUT ${kit}/stamp
  COMMAND ${CMAKE_COMMAND} -E make_directory ${kit}/Corvane ${kit}/QLNAdmin ${kit}/Service ${kit}/HubServer/Kesn
  COMMAND ${CMAKE_COMMAND} -E copy $<TARGET_FILE:QLNAdmin> ${kit}/QLNAdmin/QLNAdmin
  COMMAND ${CMAKE_COMMAND} -E copy $<TARGET_FILE:EventVwr> $<TARGET_FILE:notepad> ${kit}/QLNAdmin
  COMMAND ${CMAKE_COMMAND} -E copy $<TARGET_FILE:tshubmgr> ${kit}/Corvane/TsHubMgr.exe
  COMMAND ${CMAKE_COMMAND} -E copy $<TARGET_FILE:hbqlnsvc> ${kit}/Service/HbQlnSvc.ex_
  COMMAND ${CMAKE_COMMAND} -E copy $<TARGET_FILE:tskesnsvr> ${kit}/HubServer/Kesn/TsKesnSvr.exe
  COMMAND ${CMAKE_COMMAND} -E copy ${resource_folder}/HbQlnSvcRes_ENU.dll ${kit}/Service/HbQlnSvcRes_ENU.dl_
  COMMAND ${CMAKE_COMMAND} -E copy ${resource_folder}/MeridaneCorvane_HbQlnSvc.dll ${kit}/Service
  COMMAND ${CMAKE_COMMAND} -E copy ${resource_folder}/QLNTest_MC.DLL ${kit}/QLNAdmin
  COMMAND ${CMAKE_COMMAND} -E copy ${language_libraries} ${help_files} ${kit}/QLNAdmin
  COMMAND ${CMAKE_COMMAND} -E touch ${kit}/stamp
  DEPENDS QLNAdmin EventVwr notepad hbqlnsvc tshubmgr tskesnsvr ${resource_libraries} ${help_files}
  COMMENT "Laying out the kit")
add_custom_target(kit ALL DEPENDS ${kit}/stamp)
