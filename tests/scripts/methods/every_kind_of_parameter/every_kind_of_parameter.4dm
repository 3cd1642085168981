// Parameters of every kind arrive as they are.
tell_kind(1.5;"text";!2024-02-29!;?00:01:00?;1=1)
// expect: 1.5
// expect: text
// expect: 29
// expect: a minute
// expect: true
