/* The measure of the loader itself. */
int emptyLibrary(void);
int emptyLibrary(void) {
    return 0;
}
