// Every call begins without locals.
count_calls(0)
count_calls(0)
ALERT(String(vcalls))  // expect: 2
