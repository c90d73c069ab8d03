"""Runs one case of cases.py against the staged tree: python3 run_case.py STAGE_DIR CASE; --list names them."""
import sys
import traceback

from cases import CASES
from qlex_e2e import Failure, Session


def main():
    if sys.argv[1:] == ["--list"]:
        print(";".join(sorted(CASES)))
        return 0
    stage, name = sys.argv[1], sys.argv[2]
    case = CASES[name]()
    session = Session(stage, case.scene, case.config, getattr(case, "env", None))
    passed = False
    try:
        session.start()
        case.run(session)
        if case.ends_itself:
            session.wait_exit()
        else:
            session.quit()
        case.after(session)
        passed = True
    except Failure as failure:
        print("FAILED %s: %s" % (name, failure))
    except Exception:
        traceback.print_exc()
    finally:
        session.close()
    if passed:
        session.remove()
        print("passed " + name)
        return 0
    print("The work directory stays for a look: " + session.dir)
    print(session.log()[-3000:])
    return 1


if __name__ == "__main__":
    sys.exit(main())
