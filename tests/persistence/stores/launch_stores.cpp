// SPDX-License-Identifier: GPL-3.0-or-later
#include "persistence/stores/Stores.h"

/// The part of a first launch that makes the stores, as a program that a test can kill: launch_stores <data home>.
int main(int count, char** arguments) {
    if (count != 2) {
        return 2;
    }
    const starbloom::AppFolder folder{arguments[1]};
    folder.createAppFolder();
    starbloom::Stores stores(folder);
    stores.openCreateDB0();
    stores.openCreateDB1();
    stores.openCreateDB2();
    return 0;
}
