// SPDX-License-Identifier: GPL-3.0-or-later
#include "shell/picturesize/PictureFile.h"
#include "shell/picturesize/PictureSize.h"

#include <csignal>
#include <cstdio>
#include <iostream>
#include <iterator>
#include <string>
#include <sys/prctl.h>
#include <sys/resource.h>

// starbloom-picture-size: tells the size of the picture in a file. The application runs it because pictures come from
// anywhere: what happens to it while it reads one happens to nobody else.
//
// The file's path comes from standard input, all of it, whose bytes need not be text. Prints "<width> <height>", or
// nothing for what cannot be read as a picture.

namespace {

void limit(__rlimit_resource resource, rlim_t amount) {
    const rlimit both{amount, amount};
    ::setrlimit(resource, &both);
}

/// Far more than the headers of an honest picture need. Whoever asked has the wall clock in view.
void limitItself() {
#if !defined(__SANITIZE_ADDRESS__) // Which needs terabytes of addresses for itself.
    limit(RLIMIT_AS, rlim_t{512} << 20);
#endif
    limit(RLIMIT_CPU, 1);
    limit(RLIMIT_CORE, 0);
    ::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0);
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
}

} // namespace

int main() {
    limitItself();
    const std::string path(std::istreambuf_iterator<char>(std::cin), {});
    if (path.find('\0') != std::string::npos) {
        return 0; // No file's name.
    }
    if (const auto file = starbloom::PictureFile::open(path)) {
        const auto size = starbloom::pictureSize(*file);
        if (size.width > 0) {
            std::printf("%lld %lld\n", static_cast<long long>(size.width), static_cast<long long>(size.height));
        }
    }
    return 0;
}
