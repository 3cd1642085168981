// The names of private commands are read in any case of letters.
ALERT(_html encode("<"))  // expect: &lt;
ALERT(String(_GET CURRENT EXECUTION CONTEXT))  // expect: 0
