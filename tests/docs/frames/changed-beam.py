"""Some changes to the beam study, for the samples of a comparison: changed-beam.py OLD NEW."""
import re
import sys

with open(sys.argv[1], encoding="utf-8") as file:
    text = file.read()
# Another span, one variable less.
text = text.replace(">5,0</VARIABLE>", ">7,0</VARIABLE>")
text = re.sub(r'\n *<VARIABLE [^\n]* Name="First" [^\n]*', "", text)
# The deflection is worked out beside the sub-process, not in it.
block = re.search(r'\n    <BLOCK BlockString="Deflection".*?\n    </BLOCK>', text, re.S)[0]
connector = re.search(r'\n    <CONNECTOR [^\n]*EndBlock="Deflection"[^\n]*', text)[0]
text = text.replace(block, "").replace(connector, "")
text = text.replace("\n  </SUB_PROCESS>", "\n  </SUB_PROCESS>" + block)
text = text.replace("Analysis.Deflection.Deflection", "Deflection.Deflection")
# A look that makes another kind of it, and a way from the decision to the end.
text = re.sub(r'(Name="Report".*?Shape=")Rectangle', r"\1Oval", text, count=1, flags=re.S)
text = text.replace("\n</Process>", '\n  <CONNECTOR StartBlock="Check" StartHandle="4" EndBlock="End" EndHandle="4" '
                    'Version="1"/>\n</Process>')
with open(sys.argv[2], "w", encoding="utf-8") as file:
    file.write(text)
