// NO DEFAULT TABLE takes anything and does nothing.
NO DEFAULT TABLE
ALERT("end")  // expect: end
