#This is Brindle SDK 4.0 Generated Code.
# Do not make changes to this file .All your modifications will be lost in the next save.
import win32com.client 
import win32api 
import CustomGui 
import sys 
import THostManager 
 
 
class CheckBlock(object): 
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
        self.Stress =  0.00  
        self.Deflection =  0.00  
        self.Span =  0.00  
        self.Yield =  0.00  
        self.Ratio =  300  
        self.StressUse =  0.00  
        self.DeflectionUse =  0.00  
        return
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
     

    def getDeflection(self):         
        returnValue = None
        if(self.exvardb.checkProcessVariable(r'Deflection') == 0):
            returnValue = self.exvardb.getDoubleVarValue(r'Deflection')
        else:
            returnValue=self.Deflection 
        return returnValue    
     

    def setDeflection(self, newVal):        
        if(self.exvardb.checkProcessVariable(r'Deflection') == 0):
            self.exvardb.setDoubleVarValue(r'Deflection', newVal )
            self.Deflection=newVal 
        else:
            self.Deflection=newVal 
     

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
     

    def getYield(self):         
        returnValue = None
        if(self.exvardb.checkProcessVariable(r'Yield') == 0):
            returnValue = self.exvardb.getDoubleVarValue(r'Yield')
        else:
            returnValue=self.Yield 
        return returnValue    
     

    def setYield(self, newVal):        
        if(self.exvardb.checkProcessVariable(r'Yield') == 0):
            self.exvardb.setDoubleVarValue(r'Yield', newVal )
            self.Yield=newVal 
        else:
            self.Yield=newVal 
     

    def getRatio(self):         
        returnValue = None
        if(self.exvardb.checkProcessVariable(r'Ratio') == 0):
            returnValue = self.exvardb.getIntVarValue(r'Ratio')
        else:
            returnValue=self.Ratio 
        return returnValue    
     

    def setRatio(self, newVal):        
        if(self.exvardb.checkProcessVariable(r'Ratio') == 0):
            self.exvardb.setIntVarValue(r'Ratio', newVal )
            self.Ratio=newVal 
        else:
            self.Ratio=newVal 
     

    def getStressUse(self):         
        returnValue = None
        if(self.exvardb.checkProcessVariable(r'StressUse') == 0):
            returnValue = self.exvardb.getDoubleVarValue(r'StressUse')
        else:
            returnValue=self.StressUse 
        return returnValue    
     

    def setStressUse(self, newVal):        
        if(self.exvardb.checkProcessVariable(r'StressUse') == 0):
            self.exvardb.setDoubleVarValue(r'StressUse', newVal )
            self.StressUse=newVal 
        else:
            self.StressUse=newVal 
     

    def getDeflectionUse(self):         
        returnValue = None
        if(self.exvardb.checkProcessVariable(r'DeflectionUse') == 0):
            returnValue = self.exvardb.getDoubleVarValue(r'DeflectionUse')
        else:
            returnValue=self.DeflectionUse 
        return returnValue    
     

    def setDeflectionUse(self, newVal):        
        if(self.exvardb.checkProcessVariable(r'DeflectionUse') == 0):
            self.exvardb.setDoubleVarValue(r'DeflectionUse', newVal )
            self.DeflectionUse=newVal 
        else:
            self.DeflectionUse=newVal 
     

    def GetVariables(self):
        self.Stress = self.getStress()
        self.Deflection = self.getDeflection()
        self.Span = self.getSpan()
        self.Yield = self.getYield()
        self.Ratio = self.getRatio()
        self.StressUse = self.getStressUse()
        self.DeflectionUse = self.getDeflectionUse()
        return
    def UpdateVariables(self):
        self.setStress(self.Stress)
        self.setDeflection(self.Deflection)
        self.setSpan(self.Span)
        self.setYield(self.Yield)
        self.setRatio(self.Ratio)
        self.setStressUse(self.StressUse)
        self.setDeflectionUse(self.DeflectionUse)
        return
