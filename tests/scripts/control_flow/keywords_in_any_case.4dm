// Keywords are read in any case of letters.
IF (1=1)
  alert("upper")  // expect: upper
END IF
if (1=2)
  ALERT("never")
else
  ALERT("lower")  // expect: lower
end if
