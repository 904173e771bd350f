#pragma once

#include <csignal>

#include <sys/resource.h>

/// While it lives, files of this process end at so many bytes, as on a full disk.
class FullDisk
{
public:
    explicit FullDisk(rlim_t bytes)
    {
        getrlimit(RLIMIT_FSIZE, &mFormer);
        const rlimit full{bytes, mFormer.rlim_max};
        setrlimit(RLIMIT_FSIZE, &full);
    }
    ~FullDisk()
    {
        setrlimit(RLIMIT_FSIZE, &mFormer);
        std::signal(SIGXFSZ, mFormerHandler);
    }
    FullDisk(const FullDisk&) = delete;
    FullDisk& operator=(const FullDisk&) = delete;

private:
    rlimit mFormer{};
    void (*const mFormerHandler)(int) = std::signal(SIGXFSZ, SIG_IGN);
};
