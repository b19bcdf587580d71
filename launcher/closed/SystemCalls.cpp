// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "SystemCalls.h"

#include <cerrno>
#include <initializer_list>
#include <memory>

#include <sched.h>
#include <seccomp.h>
#include <sys/ioctl.h>
#include <sys/socket.h>

namespace {

// The sanitizers' search for leaks looks into its own process as a debugger does, and starts programs over without a
// random address space.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__) || defined(KAVRO_FOR_SANITIZERS)
const bool isInstrumented = true;
#else
const bool isInstrumented = false;
#endif

// What a calling convention does not have is no error.
class Filter
{
public:
    Filter()
        : m_context(seccomp_init(SCMP_ACT_ALLOW), seccomp_release)
    {
        if (!m_context)
            return;
        // Programs of the other word length run too.
        if (seccomp_arch_native() == SCMP_ARCH_X86_64)
            note(seccomp_arch_add(m_context.get(), SCMP_ARCH_X86));
        else if (seccomp_arch_native() == SCMP_ARCH_AARCH64)
            note(seccomp_arch_add(m_context.get(), SCMP_ARCH_ARM));
    }

    void refuse(int error, std::initializer_list<const char *> names)
    {
        for (const char *name : names)
            refuseIf(error, name, {});
    }

    void refuseIf(int error, const char *name, std::initializer_list<scmp_arg_cmp> conditions)
    {
        const int number = seccomp_syscall_resolve_name(name);
        if (m_context && number != __NR_SCMP_ERROR)
            note(seccomp_rule_add_array(m_context.get(), SCMP_ACT_ERRNO(uint32_t(error)), number,
                                        unsigned(conditions.size()), conditions.begin()));
    }

    int load()
    {
        if (!m_context)
            return ENOMEM;
        note(seccomp_load(m_context.get()));
        return -m_error;
    }

private:
    void note(int result)
    {
        if (result < 0 && m_error == 0)
            m_error = result;
    }

    std::unique_ptr<void, decltype(&seccomp_release)> m_context;
    int m_error = 0;
};

void refuseNewSandboxes(Filter *filter)
{
    filter->refuse(EPERM,
                   {"mount", "umount", "umount2", "pivot_root", "chroot", "move_mount", "open_tree", "fsopen",
                    "fsconfig", "fsmount", "fspick", "mount_setattr", "setns", "unshare", "open_by_handle_at"});
    const scmp_datum_t newUsers = CLONE_NEWUSER;
    filter->refuseIf(EPERM, "clone", {SCMP_A0(SCMP_CMP_MASKED_EQ, newUsers, newUsers)});
    // Its flags lie in memory, where a filter cannot look; programs go on with clone.
    filter->refuse(ENOSYS, {"clone3"});
}

void refuseKernelServices(Filter *filter)
{
    filter->refuse(EPERM,
                   {"syslog",
                    "uselib",
                    "acct",
                    "quotactl",
                    "quotactl_fd",
                    "add_key",
                    "keyctl",
                    "request_key",
                    "move_pages",
                    "mbind",
                    "get_mempolicy",
                    "set_mempolicy",
                    "set_mempolicy_home_node",
                    "migrate_pages",
                    "modify_ldt",
                    "bpf",
                    "userfaultfd",
                    "perf_event_open",
                    "io_uring_setup",
                    "io_uring_enter",
                    "io_uring_register",
                    "kexec_load",
                    "kexec_file_load",
                    "init_module",
                    "finit_module",
                    "delete_module",
                    "swapon",
                    "swapoff",
                    "reboot",
                    "settimeofday",
                    "clock_settime",
                    "clock_adjtime",
                    "adjtimex",
                    "process_vm_readv",
                    "process_vm_writev",
                    "kcmp",
                    "pidfd_getfd"});
    if (isInstrumented)
        return;
    filter->refuse(EPERM, {"ptrace"});
    const scmp_datum_t usual = 0;
    filter->refuseIf(EPERM, "personality", {SCMP_A0(SCMP_CMP_NE, usual)});
}

// Characters that a program puts there would be the terminal's user's own input.
void refuseTerminalInput(Filter *filter)
{
    const scmp_datum_t wholeNumber = 0xffffffff;
    for (const scmp_datum_t request : {TIOCSTI, TIOCLINUX})
        filter->refuseIf(EPERM, "ioctl", {SCMP_A1(SCMP_CMP_MASKED_EQ, wholeNumber, request)});
}

void refuseUnusualSockets(Filter *filter)
{
    for (int family = 0; family <= AF_NETLINK; ++family) {
        if (family != AF_UNSPEC && family != AF_UNIX && family != AF_INET && family != AF_INET6 && family != AF_NETLINK)
            filter->refuseIf(EAFNOSUPPORT, "socket", {SCMP_A0(SCMP_CMP_EQ, scmp_datum_t(family))});
    }
    filter->refuseIf(EAFNOSUPPORT, "socket", {SCMP_A0(SCMP_CMP_GT, scmp_datum_t(AF_NETLINK))});
}

} // namespace

int SystemCalls::restrict()
{
    Filter filter;
    refuseNewSandboxes(&filter);
    refuseKernelServices(&filter);
    refuseTerminalInput(&filter);
    refuseUnusualSockets(&filter);
    return filter.load();
}
