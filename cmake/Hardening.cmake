# What makes a mistake with memory harder to use against the user: in what users get, and in the benchmarks that
# measure it. script/check shipping reads it back from the program.
include(CheckPIESupported)
check_pie_supported()
set(CMAKE_POSITION_INDEPENDENT_CODE ON)

add_compile_options(-fstack-protector-strong)
if(APPLE)  # Apple's own linker and headers see to the rest
    add_compile_definitions(_LIBCPP_HARDENING_MODE=_LIBCPP_HARDENING_MODE_FAST)
else()
    add_compile_options(-fstack-clash-protection -U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=3)
    if(CMAKE_SYSTEM_PROCESSOR MATCHES "x86_64|AMD64")
        add_compile_options(-fcf-protection)
    elseif(CMAKE_SYSTEM_PROCESSOR MATCHES "aarch64|arm64")
        add_compile_options(-mbranch-protection=standard)
    endif()
    add_compile_definitions(_GLIBCXX_ASSERTIONS)
    add_link_options(LINKER:-z,relro LINKER:-z,now)
endif()
