#include "support/another_process.h"

int main(int argc, char** argv) { return lumora::contract::runContract(argc, argv); }
