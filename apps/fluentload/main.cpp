// fluentload: loads Fluent files through the add-on inside the host stand-in.
int main() { return 2; }
