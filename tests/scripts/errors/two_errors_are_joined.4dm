// The texts of two errors stand one behind the other, and the number is the last one's.
Case of
  : (1=$missing)  // error: -22 Unknown Variable "$missing"Wrong type in comparisonWrong Case Statement Line #3
    ALERT("never")
End case
