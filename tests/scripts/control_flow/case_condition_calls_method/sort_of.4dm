// Tells the sort of a number.
Case of
  : ($1<3)
    $0:="small"
  : ($1<10)
    $0:="middle"
  Else
    $0:="big"
End case
