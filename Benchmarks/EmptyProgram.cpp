// The cost of starting any C++ program: the bare side of the comparison of whole processes.
int main() {
    return 0;
}
