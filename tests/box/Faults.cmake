# The fault tables. A CTest test is one long life of the daemon, or some short ones: `fault_group(NAME FILTER)` runs
# the cases that the filter takes.
add_executable(fault_tests ClientFaultTest.cpp CommandFaultTest.cpp DaemonTest.cpp FaultyLife.cpp
                           FileFaultTest.cpp InterruptFaultTest.cpp MessageFuzzTest.cpp
                           RandomMessages.cpp SilentBusTest.cpp StartStateTest.cpp
                           SystemFaultTest.cpp WriteFaultTest.cpp)
target_link_libraries(fault_tests PRIVATE faults GTest::gtest GTest::gtest_main kelm_warnings)
target_compile_definitions(fault_tests PRIVATE KELM_TRD_PROGRAM="${KELM_PROGRAM_FOLDER}/kelm-trd")
kelm_start_in_box(fault_tests)
target_precompile_headers(fault_tests REUSE_FROM precompiled)
add_dependencies(fault_tests kelm-trd)

function(fault_group name filter)
  add_test(NAME FaultTest.${name} COMMAND fault_tests --gtest_filter=${filter})
  set_tests_properties(
    FaultTest.${name}
    PROPERTIES LABELS "box;faults"
               TIMEOUT 900
               # Lives last longer than other tests, so they begin first.
               COST 100
               SKIP_REGULAR_EXPRESSION "\\[  SKIPPED \\]"
               # No row means that the filter is wrong.
               FAIL_REGULAR_EXPRESSION "Running 0 tests")
endfunction()

foreach(
  failing
  IsMissing
  Fails
  IsSilent
  PrintsGarbage
  PrintsTenMegabytes
  PrintsALineWithoutAnEnd
  LeavesItsLastLineWithoutAnEnd
  IsSlow
  HangsUntilItIsKilled
  ClosesItsOutputEarly
  LeavesAChildThatHoldsThePipe)
  fault_group(ACommand${failing} Commands/*${failing})
endforeach()

foreach(write AFullDisk AReadOnlyFolder TheFileSizeLimit)
  fault_group(${write}LosesNoSetting Writes/*${write})
endforeach()

foreach(
  failing
  IsMissing
  IsEmpty
  IsAFolder
  IsAFifo
  CannotBeRead
  HasNoFinalLineFeed
  IsBinary
  IsASparseGibibyte
  IsTenMegabytes
  ChangesWhileItIsRead
  IsReplacedAgainAndAgain)
  fault_group(AFile${failing} Files/*${failing})
endforeach()
fault_group(TheKernelsMemoryFigures MemoryFileTest.*)

foreach(
  fault
  NoProcessCanBeStarted
  TheInterfacesCannotBeListed
  ThereAreHundredsOfInterfaces
  TheClockIsSteppedBackAnHour
  TheClockIsSteppedAheadAYearAndBack
  TheTimeZoneChanges
  TheNotificationFileIsRewrittenAllTheTime
  UbusIsSlowWhileClientsRead)
  fault_group(${fault} System/*${fault})
endforeach()
fault_group(StepsAndStops ShimTest.*)
fault_group(ABusIsSilent SilentBuses/*)
fault_group(AStarterLeavesAnOddState StartStates/*)
fault_group(TheLogIsNotRead LogReaderTest.*)
# The undefined-behaviour checker looks at memory through a pipe, and takes what it cannot look at for a finding.
if(NOT KELM_SANITIZE MATCHES undefined)
  fault_group(TheDescriptorLimitIsReached System/*TheDescriptorLimitIsReached)
  fault_group(TheDescriptorLimitLosesNoSetting Writes/*TheDescriptorLimit)
endif()
# While it stops, the thread sanitizer too needs a pipe, to the program that names the finding to be ignored.
if(NOT KELM_SANITIZE)
  fault_group(AnInterruptAmidFewDescriptors Interrupts/*/FewDescriptors)
endif()
# A sanitizer's shadow memory is far beyond any limit. An emulator has its program's memory reserved before the limit is
# set, so that the limit would be met by the emulator alone, which ends by it.
if(NOT KELM_SANITIZE AND NOT CMAKE_CROSSCOMPILING_EMULATOR)
  fault_group(TheMemoryLimitIsNear System/*TheMemoryLimitIsNear)
  fault_group(ALogThatDoesNotFitMemory MemoryLimitTest.*)
  fault_group(AnInterruptAmidLittleMemory Interrupts/*/LittleMemory)
endif()

foreach(
  case
  AThousandCallsInFlightEachGetTheirOwnAnswer
  EightClientsLoseAndMixUpNothingInTwentyThousandCalls
  ClientsThatDieInTheMiddleOfTheirCallsHarmNobody
  AClientThatNeverReadsItsRepliesHarmsNobody
  FourHundredUnreadReadsOfALogKeepFewRepliesInMemory
  DescriptorsInCallsAreClosedAndTheBusStaysConnected
  EveryWrongSignatureIsRefusedWithAndWithoutAnInterface
  AnyAddressIsTakenAsItIs
  AnyTextIsKeptAsItIs)
  fault_group(${case} ClientFaultTest.${case})
endforeach()
fault_group(RandomMessages MessageFuzzTest.*)
foreach(
  disturbance
  Commands
  CommandsThatHang
  ASlowUbus
  Files
  CallsInFlight
  BusyReaders
  AClientThatNeverReads
  TheNotificationFileBeingRewritten
  ABusThatGoes
  NoBus
  NoProcesses
  NoInterfaces
  ClockSteps
  HundredsOfInterfaces
  AFullDisk)
  fault_group(AnInterruptAmid${disturbance} Interrupts/*/${disturbance})
endforeach()
fault_group(StartThreeCyclesStop WholeLifeTest.Start*)
# The leak checker's closest look at the daemon: exact unwinding, and one function overlooked instead of a library.
set_tests_properties(
  FaultTest.StartThreeCyclesStop
  PROPERTIES ENVIRONMENT "ASAN_OPTIONS=detect_leaks=1:fast_unwind_on_malloc=0;\
LSAN_OPTIONS=suppressions=${PROJECT_SOURCE_DIR}/tests/lsan-exact.supp:print_suppressions=0")
if(KELM_SANITIZE MATCHES address)
  fault_group(TheLeakCheckerFindsALeak WholeLifeTest.TheLeak*)
endif()
# The longest ones of all, with sanitizers most of all.
set_tests_properties(
  FaultTest.ACommandPrintsTenMegabytes
  FaultTest.AFileIsTenMegabytes
  FaultTest.AFileIsASparseGibibyte
  FaultTest.ThereAreHundredsOfInterfaces
  FaultTest.AnInterruptAmidHundredsOfInterfaces
  PROPERTIES COST 200)
