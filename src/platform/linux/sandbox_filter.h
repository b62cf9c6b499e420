// The upper layer of the read-only sandbox: a seccomp filter that refuses every system call by which something could be
// changed, whatever path or descriptor it names.
//
//     if (const SandboxFilter* filter = sandboxFilter()) ...  // in the child, no_new_privs set:
//         seccomp(SECCOMP_SET_MODE_FILTER, SECCOMP_FILTER_FLAG_NEW_LISTENER, &filter->reporting)
#pragma once

#include <linux/filter.h>

namespace brindlet {

// Two forms of one filter. Both answer EROFS to what is refused, but `reporting` hands a call that would have changed
// something to the filter's listener instead, so that an attempt is seen even where the tool keeps quiet about it.
// (Calls that healthy tools try and do without, such as the socket of the C library's name cache, are never reported.)
// A process may have only one listener, its parents' included; where there is one already, `refusing` has to do.
struct SandboxFilter {
    sock_fprog reporting{};
    sock_fprog refusing{};
};

// Made at the first call and kept; none where the kernel or this kind of processor has no such filters.
const SandboxFilter* sandboxFilter();

// The one descriptor on which a sandboxed process may call sendmsg(2). The child hands its listener out on it before it
// becomes the tool; it is closed then, and no other socket can be had.
constexpr int listenerSocket = 3;

}  // namespace brindlet
