// _Get Current Execution Context gives 0 where nobody answers.
ALERT(String(_Get Current Execution Context))  // expect: 0
