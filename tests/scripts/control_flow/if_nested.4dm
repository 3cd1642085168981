// An If inside an If has an Else and an End If of its own.
For ($i;1;4)
  If ($i<3)
    If ($i=1)
      ALERT("one")
    Else
      ALERT("two")
    End If
  Else
    If ($i=3)
      ALERT("three")
    Else
      ALERT("more")
    End If
  End If
End For
// expect: one
// expect: two
// expect: three
// expect: more
