#include "cwmp/Run.h"

int main(int argc, char** argv) {
    return cwmp::run(argc, argv);
}
