// Placeholder entry point until the command-line front end lands.
int main()
{
    return 0;
}
