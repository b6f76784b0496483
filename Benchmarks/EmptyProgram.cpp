// What starting any C++ program costs: the bare side of the comparison of whole processes.
int main() {
    return 0;
}
