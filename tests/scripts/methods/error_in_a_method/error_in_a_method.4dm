// An error in a method ends its callers as well.
ALERT("start")  // expect: start
// expect: inside
// expect: deeper
fails_inside(1)
ALERT("never")
