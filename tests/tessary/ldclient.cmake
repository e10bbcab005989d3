# Client plug-ins for the binding's tests: the simulated monitor, and two
# builds of a faulty plug-in (openCli gives null; entry points missing or
# null).
if(TARGET tessary_ldclient_test)
  set(faulty_dir "${CMAKE_CURRENT_BINARY_DIR}/fixtures/faultyclient")
  foreach(variant nullhandle gaps)
    add_library(faultyclient_${variant} MODULE "${CMAKE_CURRENT_SOURCE_DIR}/fixtures/faultyclient/client.cpp")
    target_link_libraries(faultyclient_${variant} PRIVATE tessary)
    set_target_properties(faultyclient_${variant} PROPERTIES
      PREFIX "" OUTPUT_NAME "${variant}" LIBRARY_OUTPUT_DIRECTORY "${faulty_dir}")
    target_compile_definitions(faultyclient_${variant} PRIVATE
      FAULTY_NULL_HANDLE=$<STREQUAL:${variant},nullhandle>)
    add_dependencies(tessary_ldclient_test faultyclient_${variant})
  endforeach()
  target_compile_definitions(tessary_ldclient_test PRIVATE FAULTY_CLIENT_DIR="${faulty_dir}/")
  if(TARGET sim_client)
    add_dependencies(tessary_ldclient_test sim_client)
  endif()
endif()
