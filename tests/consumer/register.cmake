# The installed library, used as other projects use it. One test installs, moves the
# tree to another place and hides the first; the rest work on what was moved.
set(run ${CMAKE_CURRENT_LIST_DIR}/run)
set(folder ${CMAKE_CURRENT_BINARY_DIR}/consumer)

add_test(NAME consumer_install COMMAND ${run} install ${folder} ${CMAKE_BINARY_DIR})
set_tests_properties(consumer_install PROPERTIES FIXTURES_SETUP installed_tree TIMEOUT 120)

foreach(use cmake pkgconfig headers)
  add_test(NAME consumer_${use} COMMAND ${run} ${use} ${folder})
  set_tests_properties(consumer_${use} PROPERTIES FIXTURES_REQUIRED installed_tree TIMEOUT 300)
endforeach()
