# What `cmake --install` puts into a prefix: the programs, and the package "zvttvfactory" for clients that are built
# elsewhere (cmake/zvttvfactoryConfig.cmake.in). Nothing of it names the prefix, so that the folder can be moved.

include(CMakePackageConfigHelpers)
include(GNUInstallDirs)

# Libraries are in a folder of their own: Debian has another libbacktrace.so.0 than ours.
set(libraries ${CMAKE_INSTALL_LIBDIR}/zvttvfactory)
set(headers ${CMAKE_INSTALL_INCLUDEDIR}/zvttvfactory)
set(package ${CMAKE_INSTALL_LIBDIR}/cmake/zvttvfactory)
file(RELATIVE_PATH from_programs /${CMAKE_INSTALL_BINDIR} /${libraries})
get_filename_component(android_folder ${ANDROID_utils_LIBRARY} DIRECTORY)

set(programs vendor.zentrovi.tv.zvttvfactory@1.0-service fapictl hwservicemanager)
set(chip_layer vendor.zentrovi.tv.zvttvfactory@1.0-imp vendor.zentrovi.tv.zvttvfapicustom@1.0-impl)
set(archives zvttvfactory-interface hidlbase hidl-base hidl-manager)
set_target_properties(${programs} PROPERTIES INSTALL_RPATH "$ORIGIN/${from_programs};${android_folder}")
set_target_properties(lazy-backtrace PROPERTIES INSTALL_RPATH "${android_folder}")

# Built before an install, which builds nothing.
add_custom_target(installed)
add_dependencies(installed ${programs} ${chip_layer} ${archives} lazy-backtrace zvttv-check-probe)

install(TARGETS ${programs} RUNTIME)
install(TARGETS ${chip_layer} LIBRARY DESTINATION ${libraries})
install(TARGETS zvttv-check-probe LIBRARY DESTINATION lib/zvttvfactory)  # where fapictl looks, seen from itself
install(FILES tools/fapictl/fapictl.bash
    DESTINATION ${CMAKE_INSTALL_DATAROOTDIR}/bash-completion/completions RENAME fapictl)

set_target_properties(zvttvfactory-interface PROPERTIES EXPORT_NAME interface)
set_target_properties(lazy-backtrace PROPERTIES EXPORT_NAME backtrace)
install(TARGETS ${archives} hidl-headers lazy-backtrace EXPORT zvttvfactory
    ARCHIVE DESTINATION ${libraries}
    LIBRARY DESTINATION ${libraries} NAMELINK_SKIP
    INCLUDES DESTINATION ${headers})
foreach(target zvttvfactory-interface hidl-base hidl-manager)
    get_target_property(folder ${target} BINARY_DIR)
    install(DIRECTORY ${folder}/${target}.gen/ DESTINATION ${headers} FILES_MATCHING PATTERN *.h)
endforeach()
install(DIRECTORY platform/include/ DESTINATION ${headers})

install(EXPORT zvttvfactory NAMESPACE zvttvfactory:: FILE zvttvfactoryTargets.cmake DESTINATION ${package})
configure_package_config_file(cmake/zvttvfactoryConfig.cmake.in ${CMAKE_CURRENT_BINARY_DIR}/zvttvfactoryConfig.cmake
    INSTALL_DESTINATION ${package})
write_basic_package_version_file(${CMAKE_CURRENT_BINARY_DIR}/zvttvfactoryConfigVersion.cmake
    COMPATIBILITY SameMajorVersion)
install(FILES
    ${CMAKE_CURRENT_BINARY_DIR}/zvttvfactoryConfig.cmake
    ${CMAKE_CURRENT_BINARY_DIR}/zvttvfactoryConfigVersion.cmake
    cmake/AndroidLibraries.cmake
    DESTINATION ${package})

# --strip leaves archives as they are, which are nearly all debug information.
set(files "")
foreach(target IN LISTS archives)
    string(APPEND files " \"\$ENV{DESTDIR}\${CMAKE_INSTALL_PREFIX}/${libraries}/lib${target}.a\"")
endforeach()
install(CODE "
    if(CMAKE_INSTALL_DO_STRIP)
        execute_process(COMMAND \"${CMAKE_STRIP}\" --strip-debug ${files} COMMAND_ERROR_IS_FATAL ANY)
    endif()")
