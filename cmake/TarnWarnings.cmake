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
        # 32-bit x86 would otherwise compute in x87 registers with 80-bit intermediates, which
        # rounds differently from every 64-bit build: keep doubles in SSE2 registers there too.
        if(CMAKE_SIZEOF_VOID_P EQUAL 4 AND CMAKE_SYSTEM_PROCESSOR MATCHES "^(x86|X86|i[3-6]86)$")
            target_compile_options(${target} PRIVATE -msse2 -mfpmath=sse)
        endif()
    endif()
endfunction()
