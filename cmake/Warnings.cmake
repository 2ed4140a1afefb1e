# zvttv_compile_options(<target>): what every hand-written source of the tree is compiled with.
function(zvttv_compile_options target)
    target_compile_options(${target} PRIVATE
        -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor -Wcast-qual -Wformat=2 -Wundef -Werror
        # Who may touch what only with which lock held; gcc knows nothing of it.
        $<$<CXX_COMPILER_ID:Clang>:-Wthread-safety>
        # Log formats take their name and line through an optional argument list.
        $<$<CXX_COMPILER_ID:Clang>:-Wno-gnu-zero-variadic-macro-arguments>)
    target_include_directories(${target} PRIVATE ${ZVTTV_ROOT})
endfunction()
