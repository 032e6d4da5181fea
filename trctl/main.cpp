#include "trctl/Run.h"

int main(int argc, char** argv) {
    return trctl::run(argc, argv);
}
