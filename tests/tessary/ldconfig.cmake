# Configuration plug-ins that the binding's tests load for real: the suite's
# own INI plug-in, and a fake one that records its calls and fails on request.
if(TARGET tessary_ldconfig_test)
  add_library(ldconfig_fakeconfig MODULE "${CMAKE_CURRENT_SOURCE_DIR}/fixtures/ldconfig/fakeconfig.cpp")
  target_link_libraries(ldconfig_fakeconfig PRIVATE tessary)
  target_compile_definitions(ldconfig_fakeconfig PRIVATE TESSARY_CONFIG_PLUGIN)
  set_target_properties(ldconfig_fakeconfig PROPERTIES PREFIX "" OUTPUT_NAME "fakeconfig"
    LIBRARY_OUTPUT_DIRECTORY "${CMAKE_CURRENT_BINARY_DIR}/fixtures/ldconfig")
  add_dependencies(tessary_ldconfig_test ldconfig_fakeconfig ini_config)
  target_compile_definitions(tessary_ldconfig_test PRIVATE
    FAKE_CONFIG="$<TARGET_FILE:ldconfig_fakeconfig>"
    INI_CONFIG="$<TARGET_FILE:ini_config>")
  target_link_libraries(tessary_ldconfig_test PRIVATE ${CMAKE_DL_LIBS})
endif()
