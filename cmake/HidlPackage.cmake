# hidl_package(<target> PACKAGE <name@version> ROOT <folder> [INTERFACES I...] [TYPES] [LIBRARY_TYPE ...])
#
# Runs the interface compiler over one package and makes a static library of its output. <folder> is the
# folder that stands for the package's name without its version, as in the compiler's -r option.
# HIDL_ROOTS and HIDL_FILES (global properties) collect every package's root and files: a package may import those that
# were declared before it, and is generated again when they change.

find_program(HIDL_GEN hidl-gen REQUIRED)
set_property(GLOBAL PROPERTY HIDL_ROOTS "")
set_property(GLOBAL PROPERTY HIDL_FILES "")

function(hidl_package target)
    cmake_parse_arguments(arg "TYPES" "PACKAGE;ROOT" "INTERFACES" ${ARGN})
    string(REGEX REPLACE "@.*" "" name "${arg_PACKAGE}")
    string(REGEX REPLACE ".*@" "" version "${arg_PACKAGE}")
    string(REPLACE "." "/" path "${name}")
    get_property(roots GLOBAL PROPERTY HIDL_ROOTS)
    list(APPEND roots "-r${name}:${arg_ROOT}")
    list(REMOVE_DUPLICATES roots)  # versions of one package share theirs
    set_property(GLOBAL PROPERTY HIDL_ROOTS "${roots}")

    set(out "${CMAKE_CURRENT_BINARY_DIR}/${target}.gen")
    set(inputs "")
    set(sources "")
    set(headers "")
    if(arg_TYPES)
        list(APPEND inputs "${arg_ROOT}/${version}/types.hal")
        list(APPEND sources "${out}/${path}/${version}/types.cpp")
    endif()
    foreach(interface IN LISTS arg_INTERFACES)
        string(REGEX REPLACE "^I" "" base "${interface}")
        list(APPEND inputs "${arg_ROOT}/${version}/${interface}.hal")
        list(APPEND sources "${out}/${path}/${version}/${base}All.cpp")
        list(APPEND headers "${out}/${path}/${version}/${interface}.h")
    endforeach()

    set_property(GLOBAL APPEND PROPERTY HIDL_FILES ${inputs})
    # The compiler takes no other files than those whose hashes are recorded, and generates the hashes.
    if(EXISTS "${arg_ROOT}/current.txt")
        set_property(GLOBAL APPEND PROPERTY HIDL_FILES "${arg_ROOT}/current.txt")
    endif()
    get_property(files GLOBAL PROPERTY HIDL_FILES)

    add_custom_command(
        OUTPUT ${sources} ${headers}
        COMMAND ${HIDL_GEN} -R -o ${out} -L c++-headers ${roots} ${arg_PACKAGE}
        COMMAND ${HIDL_GEN} -R -o ${out} -L c++-sources ${roots} ${arg_PACKAGE}
        # The compiler leaves files alone whose text has not changed; ninja wants to see them touched.
        COMMAND ${CMAKE_COMMAND} -E touch ${sources} ${headers}
        DEPENDS ${files}
        COMMENT "Generating ${arg_PACKAGE}"
        VERBATIM)

    # Others include the headers before this library is built.
    add_custom_target(${target}-generated DEPENDS ${sources} ${headers})

    add_library(${target} STATIC ${sources})
    target_include_directories(${target} SYSTEM PUBLIC $<BUILD_INTERFACE:${out}>)
    # Generated code is not ours to mend: no warnings, and no sanitizer (a minute of build time for nothing).
    # Without exceptions, as on the device: one that passes through it runs no destructor there.
    target_compile_options(${target} PRIVATE -w -fno-sanitize=all -fno-exceptions)
    set_target_properties(${target} PROPERTIES
        POSITION_INDEPENDENT_CODE ON
        HIDL_PACKAGE "${arg_PACKAGE}"
        HIDL_HAL_FILES "${inputs}")
endfunction()
