/// GnuTLS, which the PDF library brings, is not to make itself ready when it is loaded: that takes a
/// megabyte, for ciphers that few documents need. `openFile` has it done. The name is GnuTLS's own (gnutls.h,
/// "GNUTLS_SKIP_GLOBAL_INIT").
// NOLINTBEGIN(bugprone-reserved-identifier,readability-identifier-naming)
extern "C" int _gnutls_global_init_skip();

int _gnutls_global_init_skip() {
    return 1;
}
// NOLINTEND(bugprone-reserved-identifier,readability-identifier-naming)
