# The scripted driver's cases: one CTest test per drive/NAME.expected (see
# run_case.sh): a script, its expected output, optional arguments.
if(TARGET zel-drive)
  set(ZEL_DRIVE_TESTS ${CMAKE_CURRENT_LIST_DIR})
  file(GLOB ZEL_DRIVE_CASES CONFIGURE_DEPENDS ${ZEL_DRIVE_TESTS}/*.expected)
  foreach(expected IN LISTS ZEL_DRIVE_CASES)
    get_filename_component(case ${expected} NAME_WE)
    add_test(NAME drive.${case}
      COMMAND bash ${ZEL_DRIVE_TESTS}/run_case.sh $<TARGET_FILE:zel-drive> ${ZEL_DRIVE_TESTS} ${case}
              ${ZEL_RESOURCES_DIR})
  endforeach()
endif()
