/// GnuTLS, which the PDF library brings, is not to make itself ready when it is loaded: that takes most of a
/// megabyte, for ciphers that few documents need. `openFile` does it. The name is the library's
/// (gnutls.h, "GNUTLS_SKIP_GLOBAL_INIT").
extern "C" int _gnutls_global_init_skip();  // NOLINT(bugprone-reserved-identifier)

int _gnutls_global_init_skip() {  // NOLINT(bugprone-reserved-identifier)
    return 1;
}
