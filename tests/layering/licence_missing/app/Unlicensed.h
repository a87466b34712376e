// Has no licence line, so the check must fail on this tree.
int answer();
