#include "bench/whole/Figures.h"

// trd-bench: the figures of the whole daemon, in the box. Everything, its children included, is
// meant to run on one core: taskset -c N box/box -- trd-bench.
int main() {
    {
        bench::Fleet fleet;
        bench::reportParameterMemory(fleet);
        bench::reportCallTimes(fleet);
        bench::reportKernelWork(fleet);
        fleet.stopReferences();
        bench::reportGrowth(fleet);
    }
    bench::reportLogMemory();
    bench::reportUnreadMemory();
}
