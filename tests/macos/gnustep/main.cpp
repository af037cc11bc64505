#include "support/another_process.h"

void neverRelease();

int main(int argc, char** argv) {
    neverRelease();
    return lumora::contract::runContract(argc, argv);
}
