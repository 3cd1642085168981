// Put in basket (pointer to a text; word): appends the word behind a comma.
$1->:=$1->+", "+$2
