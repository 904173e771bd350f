#pragma once

/// libpd_init() calls this to make the class pd~, which starts another Pure Data as a process and needs one
/// that is installed. The linker takes this empty function before libpd's own, so no voice can make one. To
/// be included where libpd_init() is called.
extern "C" [[gnu::used]] inline void pd_tilde_setup() {}
