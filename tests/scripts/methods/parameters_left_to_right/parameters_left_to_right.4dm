// Parameters are evaluated from left to right, and before the call.
last_of_three(note_it("1");note_it("2");note_it("3"))
// expect: 1
// expect: 2
// expect: 3
// expect: called with 3
