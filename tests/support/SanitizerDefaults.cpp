// Sanitizer settings of the native test executables, so that they behave the
// same when run by hand as under ctest. The heap tests ask for impossible
// sizes on purpose: such a request must fail with null, as on Windows, not
// abort the process.
extern "C" const char* __asan_default_options() {
    return "detect_leaks=1:allocator_may_return_null=1";
}

extern "C" const char* __ubsan_default_options() { return "print_stacktrace=1:halt_on_error=1"; }
