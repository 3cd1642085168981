// _SET ANCHOR does nothing where nobody answers.
_SET ANCHOR("here")
ALERT("end")  // expect: end
