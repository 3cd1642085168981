// Loops and locals belong to their call.
count_down(2)
// expect: 2 1
// expect: 1 1
// expect: 2 2
// expect: 1 1
