# Shared libraries that the loader's tests open for real: two that record
# their loading and unloading, and one whose function stays unresolved.
if(TARGET nimb_libloader_test)
  set(fixture_dir "${CMAKE_CURRENT_BINARY_DIR}/fixtures/libloader")
  foreach(fixture first second unresolved)
    add_library(libloader_${fixture} MODULE "${CMAKE_CURRENT_SOURCE_DIR}/fixtures/libloader/${fixture}.cpp")
    set_target_properties(libloader_${fixture} PROPERTIES
      PREFIX "" OUTPUT_NAME "${fixture}" LIBRARY_OUTPUT_DIRECTORY "${fixture_dir}")
    add_dependencies(nimb_libloader_test libloader_${fixture})
    string(TOUPPER "${fixture}" upper)
    target_compile_definitions(nimb_libloader_test PRIVATE
      LIBLOADER_${upper}="$<TARGET_FILE:libloader_${fixture}>")
  endforeach()
endif()
