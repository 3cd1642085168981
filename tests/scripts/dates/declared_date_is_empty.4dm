// Two declared dates are equal, and any date is behind them.
C_DATE($a;$b)
ALERT(Choose($a=$b;"yes";"no"))  // expect: yes
ALERT(Choose($a<!1900-01-01!;"yes";"no"))  // expect: yes
ALERT(String($a-!2024-01-01!))  // expect: 0
