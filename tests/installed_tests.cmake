# `cmake --install BUILD --component tests`, which no other installation includes: the smallest set of
# tests that tells a library at work on a set, and what runs them there (packaging/yocto).
set(installed_tests edits_test layout_test lookups_test reads_test)
set(installed_tests_dir "${CMAKE_INSTALL_LIBDIR}/channellist-access/ptest")

set_target_properties(${installed_tests} PROPERTIES INSTALL_RPATH "$ORIGIN/../..")
install(TARGETS ${installed_tests}
    RUNTIME DESTINATION "${installed_tests_dir}" COMPONENT tests EXCLUDE_FROM_ALL)
install(PROGRAMS "${PROJECT_SOURCE_DIR}/packaging/yocto/run-ptest"
    DESTINATION "${installed_tests_dir}" COMPONENT tests EXCLUDE_FROM_ALL)
