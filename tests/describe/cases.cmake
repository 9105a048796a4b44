# The contract cases of zel-describe: one CTest test per cases/NAME.args (see
# run_case.sh), the 10 MB random-file test, and a check that the committed
# description still matches its generator.
if(TARGET zel-describe)
  set(ZEL_DESCRIBE_TESTS ${CMAKE_CURRENT_LIST_DIR})
  file(GLOB ZEL_DESCRIBE_CASES CONFIGURE_DEPENDS ${ZEL_DESCRIBE_TESTS}/cases/*.args)
  foreach(args IN LISTS ZEL_DESCRIBE_CASES)
    get_filename_component(case ${args} NAME_WE)
    add_test(NAME describe.${case}
      COMMAND bash ${ZEL_DESCRIBE_TESTS}/run_case.sh $<TARGET_FILE:zel-describe>
              ${ZEL_DESCRIBE_TESTS}/cases ${case} ${ZEL_DESCRIBE_TESTS}/fixtures ${ZEL_RESOURCES_DIR})
  endforeach()
  add_test(NAME describe.random-10mb COMMAND bash ${ZEL_DESCRIBE_TESTS}/run_random.sh $<TARGET_FILE:zel-describe>)
endif()

find_package(Python3 COMPONENTS Interpreter)
if(Python3_Interpreter_FOUND)
  add_test(NAME describe.config-matches-generator
    COMMAND ${Python3_EXECUTABLE} ${CMAKE_SOURCE_DIR}/products/vantry/tools/make_config.py --check)
endif()
