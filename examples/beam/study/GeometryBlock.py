#This is Brindle SDK 4.0 Generated Code.
# Do not make changes to this file .All your modifications will be lost in the next save.
import win32com.client 
import win32api 
import CustomGui 
import sys 
import THostManager 
 
 
class GeometryBlock(object): 
    def __init__(self,block=None): 
## GUI initialization 
        
        self.VariableComClass=r'ProcessExecutive.Variables'
        self.exvardb = win32com.client.Dispatch(self.VariableComClass)
## Process Block Initialization 
        self.EXEC_MODE_NORMAL = 0
        self.EXEC_MODE_UNDO = 1
        self.EXEC_MODE_AUTO = 2
        self.InitVariables()
        self.api = win32com.client.Dispatch('ProcessExecutive.ProcessExecutiveApi')
        if(self.api != None):
            self.ExecutionMode = self.api.getExecutionType()
        else:
             self.ExecutionMode = self.EXEC_MODE_NORMAL
## End of Initialization
    def ShowDialog(self):
        pass
        return
        
    def HideDialog(self):
        pass
        return
        
    def CreateGui(self):
        pass
        
    def CreateModalGui(self):
        pass
        
    def CloseDialog(self):
        pass
        
## Default Process Block methods 
    def Execute(self):
        self.ExecuteBlock()
        return
        
    def Undo(self):
        self.UndoBlock()
        return
        
    def CanUndo(self):
        return 1
        
    def CanSkip(self):
        return 1
        
    def ExecuteBlock(self):
        return
       
    def UndoBlock(self):
        return
        
    def DrawWindow(self, window, model):
        return
        
    def PlayMacro(self):
        return
        
    def IsValidState(self):
        return 1 
        
    def InitVariables(self):
        import Kelso         
        self.SupportA =  Kelso.Point2(' 0,0')  
        self.SupportB =  Kelso.Point2(' 5,0')  
        self.Span =  0.00  
        return
    def getSupportA(self):         
        returnValue = None
        import Kelso
        if(self.exvardb.checkProcessVariable(r'SupportA') == 0):
            tempValue = self.exvardb.getPoint2VarValue(r'SupportA')
            returnValue = Kelso.Point2(str(tempValue))
        else:
            returnValue=self.SupportA
        if(returnValue==None):
           exceptionError = str("SupportA") + " variable could not be resolved: Aborting Execution"
           raise Exception(exceptionError)
        return returnValue    
        
        
    def setSupportA(self, newVal):        
        import Kelso
        if(self.exvardb.checkProcessVariable(r'SupportA') == 0):
             tempValue=Kelso.GetPoint2Identifier(newVal)
             self.exvardb.setPoint2VarValue(r'SupportA', tempValue)
             self.SupportA= tempValue 
        else: 
             self.SupportA= newVal 
        

    def getSupportB(self):         
        returnValue = None
        import Kelso
        if(self.exvardb.checkProcessVariable(r'SupportB') == 0):
            tempValue = self.exvardb.getPoint2VarValue(r'SupportB')
            returnValue = Kelso.Point2(str(tempValue))
        else:
            returnValue=self.SupportB
        if(returnValue==None):
           exceptionError = str("SupportB") + " variable could not be resolved: Aborting Execution"
           raise Exception(exceptionError)
        return returnValue    
        
        
    def setSupportB(self, newVal):        
        import Kelso
        if(self.exvardb.checkProcessVariable(r'SupportB') == 0):
             tempValue=Kelso.GetPoint2Identifier(newVal)
             self.exvardb.setPoint2VarValue(r'SupportB', tempValue)
             self.SupportB= tempValue 
        else: 
             self.SupportB= newVal 
        

    def getSpan(self):         
        returnValue = None
        if(self.exvardb.checkProcessVariable(r'Span') == 0):
            returnValue = self.exvardb.getDoubleVarValue(r'Span')
        else:
            returnValue=self.Span 
        return returnValue    
     

    def setSpan(self, newVal):        
        if(self.exvardb.checkProcessVariable(r'Span') == 0):
            self.exvardb.setDoubleVarValue(r'Span', newVal )
            self.Span=newVal 
        else:
            self.Span=newVal 
     

    def GetVariables(self):
        self.SupportA = self.getSupportA()
        self.SupportB = self.getSupportB()
        self.Span = self.getSpan()
        return
    def UpdateVariables(self):
        self.setSupportA(self.SupportA)
        self.setSupportB(self.SupportB)
        self.setSpan(self.Span)
        return
