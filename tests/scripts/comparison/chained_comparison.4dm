// A chain of comparisons is an error.
If (1<2<3)  // error: -1 Comparison with more than two values is not allowed
  ALERT("never")
End If
