// Tabs stand between tokens like blanks.
	$a	:=	5
	ALERT(	String($a	)	)	// expect: 5
