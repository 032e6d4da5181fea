#include "client/Run.h"

int main(int argc, char** argv) {
    return client::run(argc, argv);
}
