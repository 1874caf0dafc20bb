#pragma once
// What a row of TransportEntries.inc is made into: UC_PARAMETERS((int, a), (char *, b)) gives "int a, char * b",
// UC_ARGUMENTS of the same pairs "a, b". Both give nothing for a row without parameters.

#define UC_PAIR_PARAMETER(type, name) type name
#define UC_PAIR_ARGUMENT(type, name) name

// The largest row has seven parameters; a longer one fails to compile here.
// clang-format off
#define UC_LIST_1(use, a)      use a
#define UC_LIST_2(use, a, ...) use a, UC_LIST_1(use, __VA_ARGS__)
#define UC_LIST_3(use, a, ...) use a, UC_LIST_2(use, __VA_ARGS__)
#define UC_LIST_4(use, a, ...) use a, UC_LIST_3(use, __VA_ARGS__)
#define UC_LIST_5(use, a, ...) use a, UC_LIST_4(use, __VA_ARGS__)
#define UC_LIST_6(use, a, ...) use a, UC_LIST_5(use, __VA_ARGS__)
#define UC_LIST_7(use, a, ...) use a, UC_LIST_6(use, __VA_ARGS__)
#define UC_LIST_OF(p1, p2, p3, p4, p5, p6, p7, list, ...) list
// clang-format on

#define UC_LIST(use, ...)                                                                                              \
    UC_LIST_OF(__VA_ARGS__, UC_LIST_7, UC_LIST_6, UC_LIST_5, UC_LIST_4, UC_LIST_3, UC_LIST_2, UC_LIST_1, )             \
    (use, __VA_ARGS__)

#define UC_PARAMETERS(...) __VA_OPT__(UC_LIST(UC_PAIR_PARAMETER, __VA_ARGS__))
#define UC_ARGUMENTS(...) __VA_OPT__(UC_LIST(UC_PAIR_ARGUMENT, __VA_ARGS__))
