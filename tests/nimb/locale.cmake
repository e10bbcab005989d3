# The texts of dates, JSON and log lines do not follow the user's language:
# these tests run once more in a locale with its own digits and names.
foreach(test nimb_datetime_test nimb_json_test nimb_logger_test)
  add_test(NAME ${test}_in_arabic COMMAND ${test})
  set_tests_properties(${test}_in_arabic PROPERTIES LABELS unit ENVIRONMENT "LC_ALL=ar_EG.UTF-8")
endforeach()
