import sys

from tarn.study.command import main

if __name__ == "__main__":
    sys.exit(main())
