// Loops and branches nest in any order.
For ($i;1;2)
  Case of
    : ($i=1)
      $n:=0
      While ($n<2)
        $n:=$n+1
        Case of
          : ($n=1)
            ALERT("n one")
          Else
            ALERT("n other")
        End case
      End while
    Else
      ALERT("i other")
  End case
End For
// expect: n one
// expect: n other
// expect: i other
