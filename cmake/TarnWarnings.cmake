# Warning and floating-point settings shared by the library, its tests, examples and benchmarks.

function(tarn_set_warnings target)
    if(MSVC)
        target_compile_options(${target} PRIVATE /W4 $<$<BOOL:${TARN_WERROR}>:/WX>)
    else()
        target_compile_options(${target} PRIVATE -Wall -Wextra -Wpedantic $<$<BOOL:${TARN_WERROR}>:-Werror>)
    endif()
endfunction()

# Results of the matrix kernels depend on the order of every multiply and add: the compiler must
# neither fuse them nor reassociate them, on any build or platform.
function(tarn_set_exact_float target)
    if(MSVC)
        target_compile_options(${target} PRIVATE /fp:precise)
    else()
        target_compile_options(${target} PRIVATE -ffp-contract=off -fno-fast-math)
    endif()
endfunction()
