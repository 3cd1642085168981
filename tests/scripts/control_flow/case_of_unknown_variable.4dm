// An error in the condition of a branch is followed by the one of the branch.
Case of
  : ($missing)  // error: -22 Unknown Variable "$missing"Wrong Case Statement Line #3
    ALERT("never")
End case
