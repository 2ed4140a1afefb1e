# The platform's own log, reference-counting and utility libraries, as Debian packages them:
# android-liblog-dev, android-libutils-dev, android-libcutils-dev. They live in a folder of their own that
# the loader does not search, so their users carry it as their run path.

find_path(ANDROID_INCLUDE_DIR log/log.h PATHS /usr/include/android NO_DEFAULT_PATH REQUIRED)
foreach(name log utils cutils)
    find_library(ANDROID_${name}_LIBRARY ${name} PATHS /usr/lib/${CMAKE_LIBRARY_ARCHITECTURE}/android
                 NO_DEFAULT_PATH REQUIRED)
    get_filename_component(folder ${ANDROID_${name}_LIBRARY} DIRECTORY)
    add_library(android::${name} SHARED IMPORTED GLOBAL)
    set_target_properties(android::${name} PROPERTIES
        IMPORTED_LOCATION ${ANDROID_${name}_LIBRARY}
        INTERFACE_INCLUDE_DIRECTORIES ${ANDROID_INCLUDE_DIR})
endforeach()
