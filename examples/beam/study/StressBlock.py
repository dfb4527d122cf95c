#This is Brindle SDK 4.0 Generated Code.
# Do not make changes to this file .All your modifications will be lost in the next save.
import win32com.client 
import win32api 
import CustomGui 
import sys 
import THostManager 
 
 
class StressBlock(object): 
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
        self.Moment =  0.00  
        self.Modulus =  0.00  
        self.Stress =  0.00  
        return
    def getMoment(self):         
        returnValue = None
        if(self.exvardb.checkProcessVariable(r'Moment') == 0):
            returnValue = self.exvardb.getDoubleVarValue(r'Moment')
        else:
            returnValue=self.Moment 
        return returnValue    
     

    def setMoment(self, newVal):        
        if(self.exvardb.checkProcessVariable(r'Moment') == 0):
            self.exvardb.setDoubleVarValue(r'Moment', newVal )
            self.Moment=newVal 
        else:
            self.Moment=newVal 
     

    def getModulus(self):         
        returnValue = None
        if(self.exvardb.checkProcessVariable(r'Modulus') == 0):
            returnValue = self.exvardb.getDoubleVarValue(r'Modulus')
        else:
            returnValue=self.Modulus 
        return returnValue    
     

    def setModulus(self, newVal):        
        if(self.exvardb.checkProcessVariable(r'Modulus') == 0):
            self.exvardb.setDoubleVarValue(r'Modulus', newVal )
            self.Modulus=newVal 
        else:
            self.Modulus=newVal 
     

    def getStress(self):         
        returnValue = None
        if(self.exvardb.checkProcessVariable(r'Stress') == 0):
            returnValue = self.exvardb.getDoubleVarValue(r'Stress')
        else:
            returnValue=self.Stress 
        return returnValue    
     

    def setStress(self, newVal):        
        if(self.exvardb.checkProcessVariable(r'Stress') == 0):
            self.exvardb.setDoubleVarValue(r'Stress', newVal )
            self.Stress=newVal 
        else:
            self.Stress=newVal 
     

    def GetVariables(self):
        self.Moment = self.getMoment()
        self.Modulus = self.getModulus()
        self.Stress = self.getStress()
        return
    def UpdateVariables(self):
        self.setMoment(self.Moment)
        self.setModulus(self.Modulus)
        self.setStress(self.Stress)
        return
