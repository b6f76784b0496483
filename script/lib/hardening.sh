# What cmake/Hardening.cmake asks for, read back from the program. To be sourced.
# shellcheck shell=bash

# missingHardening PROGRAM: a line for each thing that should make mistakes with memory harder to use, and that the
# program does not have. Of those that are only instructions, one that can be there for no other reason is looked for;
# the libraries that are linked into it (of C, and pugixml) were hardened by those who built them, and tell nothing.
missingHardening() {
    local code names called
    if [ "$(uname -s)" = Darwin ]; then
        names=$(nm -u "$1") # whole: a grep that leaves early ends nm with a signal, which pipefail takes for its answer
        grep -q PIE <<<"$(otool -hv "$1")" || echo "a place in memory that changes"
        grep -q ___stack_chk_fail <<<"$names" || echo "stack protection"
        return
    fi
    names=$(readelf -sW --dyn-syms "$1") code=$(objdump -d --no-show-raw-insn "$1")
    called=$(awk '/^[0-9a-f]+ </ { isOurs = $2 ~ /^<(main|_Z)/ && $2 !~ /4pugi/ } isOurs && /<__.*_chk/' <<<"$code")
    readelf -dW "$1" | grep -q 'FLAGS_1.* PIE' || echo "a place in memory that changes"
    readelf -lW "$1" | grep -q GNU_RELRO || echo "tables of addresses that can't be written"
    readelf -dW "$1" | grep -q 'FLAGS_1.* NOW' || echo "addresses that are bound at the start"
    grep -q '<__stack_chk_fail@' <<<"$called" || echo "stack protection"
    grep -qE '<__(mem|str|v?snprintf|read|f?printf|fread)[a-z]*_chk@' <<<"$called" ||
        echo "functions that know how large a buffer is"
    grep -q '__glibcxx_assert_fail' <<<"$names" || echo "the checks of the C++ library"
    case $(uname -m) in
        x86_64)
            grep -A 1 '<main>:' <<<"$code" | grep -q endbr64 || echo "control-flow protection"
            # shellcheck disable=SC2016
            grep -q 'or[lq] *$0x0,(%rsp)' <<<"$code" || echo "stack-clash protection"
            ;;
        aarch64) grep -A 1 '<main>:' <<<"$code" | grep -qE 'bti|paciasp' || echo "control-flow protection" ;;
    esac
}
