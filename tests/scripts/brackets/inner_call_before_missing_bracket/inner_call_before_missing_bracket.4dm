// Required: complete calls inside run before a missing bracket is found.
$x:=(1+shout_it("called")  // error: -41 Closed Bracket expected
// expect: called
