// A line that is only a comment does nothing.
//
// ALERT("never")
//ALERT("never")
   // ALERT("never")
ALERT("end")  // expect: end
