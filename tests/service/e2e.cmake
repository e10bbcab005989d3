# The daemon's end-to-end tests need the daemon and both plug-ins built, and
# run for tens of seconds each.
foreach(test service_shutdown_test service_hibernate_test service_failure_test service_daemon_test)
  if(TARGET ${test})
    add_dependencies(${test} shutsvc sim_client ini_config)
    set_tests_properties(${test} PROPERTIES LABELS "e2e;slow" TIMEOUT 600)
  endif()
endforeach()
