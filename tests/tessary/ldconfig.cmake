# Configuration plug-ins that the binding's tests load for real: the suite's
# own INI plug-in, and a fake one (complete and without getClientConfig) that
# records its calls and fails on request.
if(TARGET tessary_ldconfig_test)
  set(fixture_dir "${CMAKE_CURRENT_BINARY_DIR}/fixtures/ldconfig")
  foreach(variant fakeconfig partialconfig)
    add_library(ldconfig_${variant} MODULE "${CMAKE_CURRENT_SOURCE_DIR}/fixtures/ldconfig/fakeconfig.cpp")
    target_link_libraries(ldconfig_${variant} PRIVATE tessary)
    target_compile_definitions(ldconfig_${variant} PRIVATE TESSARY_CONFIG_PLUGIN)
    set_target_properties(ldconfig_${variant} PROPERTIES
      PREFIX "" OUTPUT_NAME "${variant}" LIBRARY_OUTPUT_DIRECTORY "${fixture_dir}")
    add_dependencies(tessary_ldconfig_test ldconfig_${variant})
  endforeach()
  target_compile_definitions(ldconfig_partialconfig PRIVATE FAKE_CONFIG_PARTIAL)
  target_compile_definitions(tessary_ldconfig_test PRIVATE
    FAKE_CONFIG="$<TARGET_FILE:ldconfig_fakeconfig>"
    PARTIAL_CONFIG="$<TARGET_FILE:ldconfig_partialconfig>"
    INI_CONFIG="$<TARGET_FILE:ini_config>")
  add_dependencies(tessary_ldconfig_test ini_config)
  target_link_libraries(tessary_ldconfig_test PRIVATE ${CMAKE_DL_LIBS})
endif()
